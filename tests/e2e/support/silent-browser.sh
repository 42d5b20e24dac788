#!/bin/sh
# Stands in for a browser that starts but never answers on its DevTools pipe:
# it ignores its arguments and sleeps. The end-to-end tests use it to check
# that the control gives up in time and leaves nothing behind.
exec sleep 600
