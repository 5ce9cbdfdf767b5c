#!/usr/bin/env bash
# Runs a test program on an X server of its own, so widget tests that run in
# parallel never share a screen (and with it the pointer). Xvfb picks a free
# display number itself and reports it through a pipe, which leaves no race
# between two tests starting together.
# Usage: with-xvfb.sh PROGRAM [ARGS...]
set -u

if ! command -v Xvfb >/dev/null 2>&1; then
  exec "$@"  # no X server to start: widget tests skip themselves
fi

fifo=$(mktemp -u /tmp/tav-xvfb-XXXXXX)
mkfifo "$fifo"
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3>"$fifo" 2>/dev/null &
server=$!
read -r display <"$fifo"
rm -f "$fifo"
if [ -z "$display" ]; then
  echo "with-xvfb: Xvfb did not start" >&2
  kill "$server" 2>/dev/null
  exit 1
fi

# The leak checker of GCC 12 now and then crashes while it stops the
# program's threads at exit ("Tracer caught signal 11"). That is the checker
# failing, not the test: such a run is said so and run once more.
errors=$(mktemp /tmp/tav-test-stderr-XXXXXX)
for attempt in 1 2; do
  DISPLAY=":$display" "$@" 2>"$errors"
  status=$?
  cat "$errors" >&2
  if [ $status -eq 0 ] || [ $attempt -eq 2 ] ||
     ! grep -q "LeakSanitizer has encountered a fatal error" "$errors"; then
    break
  fi
  echo "with-xvfb: the leak checker itself crashed; running the program once more" >&2
done
rm -f "$errors"
kill "$server" 2>/dev/null
wait "$server" 2>/dev/null
exit $status
