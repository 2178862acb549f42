#!/bin/sh
# Answers the code rules of this example, as a service technician's test bench would: one JSON object comes on the
# standard input, exit status 0 says that the fault is present, 1 that it is not, anything else that there is no answer.
question=$(cat)
case $question in
*pixel*) exit 0 ;; # the bench has seen dead pixels
*keyboard*) exit 1 ;; # all keys answer
*) echo "code-runner.sh: no such test: $question" >&2; exit 2 ;;
esac
