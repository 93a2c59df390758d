#!/usr/bin/env python3
"""Validates documents against a schema: validate.py SCHEMA DOCUMENTS, one document on each line of the second file.

Prints what is wrong; ends with 1 on any. Most documents differ in a few objects only, so an object that stood in the same
place of the schema before is not looked at again."""
import json
import sys

from jsonschema import Draft202012Validator, validators

sound = set()


def remember_reference(validator, reference, instance, schema):
    key = (reference, json.dumps(instance, sort_keys=True))
    if key in sound:
        return
    errors = list(Draft202012Validator.VALIDATORS["$ref"](validator, reference, instance, schema))
    if not errors:
        sound.add(key)
    yield from errors


with open(sys.argv[1], encoding="utf-8") as file:
    schema = json.load(file)
Draft202012Validator.check_schema(schema)
validator = validators.extend(Draft202012Validator, {"$ref": remember_reference})(schema)
count = failed = 0
with open(sys.argv[2], encoding="utf-8") as file:
    for count, line in enumerate(file, 1):
        for error in validator.iter_errors(json.loads(line)):
            failed += 1
            print(f"line {count}: {'/'.join(map(str, error.absolute_path))}: {error.message[:300]}")
print(f"{count} documents, {failed} errors")
sys.exit(1 if failed or not count else 0)
