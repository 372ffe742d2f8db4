#!/bin/sh
# Builds the SDK against another GenApi runtime, for which our own one stands in: only names of the interface may be
# used, and no file of our runtime may be needed.
#
# check-foreign-genapi.sh SOURCE_DIR OUR_LIBRARY WORK_DIR TARGET [CMAKE_ARGUMENT...]
set -eu
source=$1
library=$2
work=$3
target=$4
shift 4

rm -rf "$work"
mkdir -p "$work/runtime"
cp -r "$source/include/GenApi" "$work/runtime/include"
# The extensions that other runtimes lack.
rm "$work/runtime/include/GenApi/ICacheSwitch.h" "$work/runtime/include/GenApi/ILoadNotes.h"
cp -L "$library" "$work/runtime/libGenApi.so"

cmake -S "$source" -B "$work/build" -G Ninja "$@" \
  -DZYN_GENAPI_INCLUDE_DIR="$work/runtime/include" -DZYN_GENAPI_LIBRARIES="$work/runtime/libGenApi.so" \
  -DZYN_BUILD_TESTS=OFF -DZYN_BUILD_BENCH=OFF -DZYN_BUILD_TOOLS=OFF -DZYN_BUILD_EXAMPLES=OFF
cmake --build "$work/build" --target "$target" -j2

if grep -q -e "$source/include/GenApi" -e "-I$source/platform/genapi" "$work/build/build.ninja"; then
  echo "the build knows files of our own runtime" >&2
  exit 1
fi

# A runtime that is only half named is refused, with a word about what is missing.
if cmake -S "$source" -B "$work/half" -G Ninja "$@" -DZYN_GENAPI_INCLUDE_DIR="$work/runtime/include" \
    -DZYN_BUILD_TESTS=OFF >"$work/half.log" 2>&1; then
  echo "a runtime without library was accepted" >&2
  exit 1
fi
grep -q "ZYN_GENAPI_LIBRARIES must name" "$work/half.log"
