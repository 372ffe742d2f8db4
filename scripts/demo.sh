#!/usr/bin/env bash
# Installs what is missing and builds the library.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release
