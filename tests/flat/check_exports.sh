#!/usr/bin/env bash
# The shared library's dynamic symbol table holds the API and nothing else: the flat C
# functions are exactly those the C headers declare, and every C++ symbol belongs to
# namespace RYSDK.
set -euo pipefail
library=$1
include_dir=$2/rysdk

exported=$(nm -D --defined-only "$library" | awk '{print $NF}' | sed 's/@.*//' | sort -u)
c_exported=$(grep -v '^_Z' <<<"$exported" || true)
declared=$(grep -ohE 'RYSDK_API [A-Za-z_]+ [A-Za-z0-9_]+\(' \
               "$include_dir/rysdk_c.h" "$include_dir/rysdk_c_camera.h" "$include_dir/RyConvert.h" |
           sed -E 's/.* ([A-Za-z0-9_]+)\($/\1/' | sort -u)

status=0
if ! difference=$(diff <(echo "$declared") <(echo "$c_exported")); then
    echo "C symbols differ from the C headers (< declared only, > exported only):"
    echo "$difference"
    status=1
fi
foreign=$(grep '^_Z' <<<"$exported" | c++filt |
          grep -vE '^((typeinfo|typeinfo name|vtable) for )?RYSDK::' || true)
if [ -n "$foreign" ]; then
    echo "C++ symbols outside namespace RYSDK:"
    echo "$foreign"
    status=1
fi
echo "$(wc -l <<<"$declared") C functions, $(grep -c '^_Z' <<<"$exported") C++ symbols"
exit $status
