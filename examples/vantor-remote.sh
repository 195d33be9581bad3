#!/bin/bash
# vantor-remote.sh LINE...: sends these lines to the running Vantor, each an argument of its own:
#
#     vantor-remote.sh 'file "/films/clip.mov" 10 50' 'frame 12'
printf '%s\n' "$@" >"/dev/tcp/127.0.0.1/${VANTOR_PORT:-17171}"
