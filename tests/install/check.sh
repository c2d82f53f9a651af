#!/bin/sh
# Installs the built tree into a scratch prefix and builds and runs the consumer
# against it, once as a CMake package and once through pkg-config.
set -eu
build=$1
consumer=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
CFLAGS=-m32 cmake -S "$consumer" -B "$scratch/build" -DCMAKE_PREFIX_PATH="$scratch/prefix" >/dev/null
cmake --build "$scratch/build" >/dev/null
"$scratch/build/consumer"

config=$(find "$scratch/prefix" -name quillfn.pc)
flags=$(PKG_CONFIG_PATH=$(dirname "$config") pkg-config --cflags --libs quillfn)
# shellcheck disable=SC2086 # the flags are words
cc -std=c99 -pedantic -Wall -Werror "$consumer/consumer.c" $flags -o "$scratch/consumer"
LD_LIBRARY_PATH=$(dirname "$(find "$scratch/prefix" -name libquillfn.so)") "$scratch/consumer"
