#!/usr/bin/env python3
"""Validates documents against a schema: validate.py SCHEMA DOCUMENT... Prints what is wrong; ends with 1 on any."""
import json
import sys

from jsonschema import Draft202012Validator

with open(sys.argv[1], encoding="utf-8") as file:
    schema = json.load(file)
Draft202012Validator.check_schema(schema)
validator = Draft202012Validator(schema)
failed = False
for name in sys.argv[2:]:
    with open(name, encoding="utf-8") as file:
        for error in validator.iter_errors(json.load(file)):
            failed = True
            print(f"{name}: {'/'.join(map(str, error.absolute_path))}: {error.message[:300]}")
sys.exit(1 if failed else 0)
