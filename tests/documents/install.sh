#!/usr/bin/env bash
# Installs what was built, for the examples of the documents: install.sh BUILD_FOLDER PREFIX
set -euo pipefail
rm -rf "$2"
cmake --install "$1" --prefix "$2" >/dev/null
