# shellcheck shell=bash
# shellcheck disable=SC2034  # used by the scripts that source this
# What the figures may be at most. run.sh prints each beside its figure, gate.sh holds those that repeat to the digit.

most_instructions=2.0 # of a command, times the floor's
most_own_of_all=3.0 # the same without the library in either, where the rest shows: the worst of all commands
most_own=2.5 # and of one command, with
per_byte=50 # further instructions that making a byte of output may take; the floor makes none
most_calls=20 # system calls of a command above the floor's
usual_records=3 # that most_calls has room for: the command line, the entry mark, and one of a target parser
calls_per_record=5 # set aside for each further record
most_calls_per_record=8

most_latency=1.03 # wall time of the largest topology at 1 ms a call, times requests x latency
most_report_cpu=5 # ms of processor time of a report on it above the floor's
most_creation_cpu=20 # ms of processor time of a whole easy creation on 240 drives
most_wall=1.3 # wall time of a command, times the floor's
most_memory=3 # MB of peak resident memory above the floor's
most_growth=1.1 # exponent, with controllers and with drives
most_refusal=1.5 # wall time of a refused command word, times the floor's
most_positioning=1.5 # first positioning in a full ring, times reading the file once

most_companion_requests=4199 # of zebstat json on the largest topology
most_companion_cpu=20 # ms of its processor time there above the floor's
most_companion_start=1.3 # wall time of zebstat --version, times an empty C++ program's
most_forwarding=20 # microseconds that the recorder adds to a request it hands on
