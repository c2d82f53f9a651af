#!/bin/sh
# Holds what the library given promises as an object: its soname, what it needs,
# how it hardens, and that no instruction fuses a product into a sum.
set -eu
library=$1
fail() {
    echo "$1" >&2
    exit 1
}
dynamic=$(readelf -dW "$library")
headers=$(readelf -lW "$library")
has() { printf '%s\n' "$1" | grep -q "$2"; }

has "$dynamic" 'SONAME.*\[libquillfn\.so\]' || fail "wrong soname"
needed=$(printf '%s\n' "$dynamic" | sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' | sort | tr '\n' ' ')
case $needed in
"libc.so.6 " | "libc.so.6 libm.so.6 ") ;;
*) fail "needs $needed" ;;
esac
has "$dynamic" TEXTREL && fail "text relocations"
has "$dynamic" SYMBOLIC && fail "bound to its own symbols"
has "$dynamic" BIND_NOW || fail "not bound at load"
has "$headers" GNU_RELRO || fail "no RELRO"
has "$headers" 'GNU_STACK.*RW ' || fail "executable stack"
readelf -rW "$library" | grep -q 'JUMP_SLOT.*f90_getspace' || fail "f90_getspace is not called through the PLT"
objdump -d "$library" | grep -qE '\bvfn?m(add|sub)' && fail "fused multiply-add"
echo "needs $needed; the rest holds"
