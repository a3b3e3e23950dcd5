#!/usr/bin/env bash
# Installs the build, makes a Debian package of it, and builds hosts against both as integrators do:
# with CMake's package and with pkg-config. Folders have blanks in their names.
#
#   install_test.sh BUILD CMAKE CPACK CC CXX
set -euo pipefail
build=$1 cmake=$2 cpack=$3 cc=$4 cxx=$5
here=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

fail() {
  echo "$*" >&2
  exit 1
}

# Both hosts run and print the version that the package has.
expect_version() {  # programs
  local program
  for program in "$@"; do
    [[ $("$program") == "$version" ]] || fail "$program is not of $version"
  done
}

try_installed() {  # prefix
  local prefix=$1 hosts="$folder/hosts of ${1##*/}" pc
  local flags=(-Wall -Wextra -pedantic -Werror)
  "$cmake" -G Ninja -S "$here" -B "$hosts" -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx"
  "$cmake" --build "$hosts"
  pc=$(dirname "$(find "$prefix" -name zavricustpro.pc)")
  version=$(PKG_CONFIG_PATH=$pc pkg-config --modversion zavricustpro)
  expect_version "$hosts/host_c" "$hosts/host_cxx"

  eval "local found=($(PKG_CONFIG_PATH=$pc pkg-config --cflags --libs zavricustpro))"
  "$cc" -std=c11 "${flags[@]}" "$here/host.c" -o "$hosts/c" "${found[@]}"
  "$cc" -std=c11 "${flags[@]}" "$(find "$prefix" -path '*/examples/host.c')" -o "$hosts/example" \
    "${found[@]}"
  "$cxx" -std=c++17 "${flags[@]}" "$here/host.cpp" -o "$hosts/cxx" "${found[@]}"
  LD_LIBRARY_PATH=$(dirname "$pc") expect_version "$hosts/c" "$hosts/cxx"
}

"$cmake" --install "$build" --prefix "$folder/an installed tree"
try_installed "$folder/an installed tree"

(cd "$build" && "$cpack" -B "$folder")
package=$(echo "$folder"/*.deb)
dpkg-deb -x "$package" "$folder/a package"
try_installed "$folder/a package/usr"
depends=$(dpkg-deb -f "$package" Depends)
for library in libc6 libavcodec android-liblog; do
  [[ $depends == *$library* ]] || fail "the package does not depend on $library, but on $depends"
done

# The manual has every command with its example; the shell completes what the program knows.
usr=$folder/a\ package/usr
manual=$(<"$usr/share/man/man1/zavri.1")
PATH=$usr/bin:$PATH
source "$usr/share/bash-completion/completions/zavri"
complete_words() {
  COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
  _zavri zavri
}
complete_words zavri ''
((${#COMPREPLY[@]} > 10)) || fail "zavri completes to ${COMPREPLY[*]}"
for command in "${COMPREPLY[@]}"; do
  [[ $command == -* || $manual == *"zavri $command [OPTIONS]"* ]] || fail "no $command in the manual"
done
complete_words zavri denoise --thr
[[ "${COMPREPLY[*]}" == --thresh* ]] || fail "--thr completes to ${COMPREPLY[*]}"
