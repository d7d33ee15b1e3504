# Shell functions of ./run and ./test: install what is missing, configure and build. Sourced at the top of the tree.

# missing PACKAGE COMMAND: is the command absent? Then the package goes on the list.
missing() {
  command -v "$2" >/dev/null 2>&1 || packages="$packages $1"
}

install_packages() {
  [ -z "$packages" ] && return 0
  echo "installing:$packages" >&2
  if [ "$(id -u)" = 0 ]; then sudo=""; else sudo="sudo"; fi
  $sudo apt-get update -qq >&2
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -qq -y --no-install-recommends $packages >&2
}

tools_for_build() {
  packages=""
  missing g++ g++
  missing cmake cmake
  missing ninja-build ninja
  [ -e /usr/include/cairo/cairo.h ] || packages="$packages libcairo2-dev"
  install_packages
}

tools_for_tests() {
  packages=""
  missing python3 python3
  missing clang clang++
  missing ghostscript gs
  [ -e /usr/include/gtest/gtest.h ] || packages="$packages libgtest-dev"
  install_packages || return 1
  # The sanitizers' own libraries are a package of the compiler's version.
  packages=""
  [ -e "$(clang++ -print-resource-dir)/lib/linux/libclang_rt.asan-$(uname -m).a" ] ||
    packages="libclang-rt-$(clang++ -dumpversion | cut -d. -f1)-dev"
  install_packages
}

# configure FOLDER OPTION...: Ninja files in FOLDER; a compiler cache is used if there is one.
configure() {
  folder="$1"
  shift
  if command -v ccache >/dev/null 2>&1; then set -- "$@" -DCMAKE_CXX_COMPILER_LAUNCHER=ccache; fi
  cmake -S . -B "$folder" -G Ninja "$@" >"$folder.cmake.log" 2>&1 || { cat "$folder.cmake.log" >&2; return 1; }
  rm -f "$folder.cmake.log"
}

# build FOLDER TARGET...: prints only what went wrong.
build() {
  folder="$1"
  shift
  ninja -C "$folder" "$@" >"$folder/build.log" 2>&1 || { cat "$folder/build.log" >&2; return 1; }
}
