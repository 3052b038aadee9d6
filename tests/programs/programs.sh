# Sourced by the scripts beside it: not a compiler cache, nor a version manager's stand-in.
compiler=/usr/bin/g++
python=/usr/bin/python3
[ -x $compiler ] || compiler=$(command -v g++)
[ -x $python ] || python=$(python3 -c 'import sys; print(sys.executable)')
