# SPDX-License-Identifier: BSL-1.0
# Shared by the tools; to be sourced.
# shellcheck shell=bash

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
preset=${KESTA_PRESET:-mingw-release}
build=$project/build/$preset

say() { printf '==> %s\n' "$*"; }

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# need PACKAGE...: installs those Debian packages that are missing.
need() {
  local package there missing=()
  there=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null) || true
  for package; do
    grep -qx "$package installed" <<<"$there" || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  if ! command -v apt-get >/dev/null; then
    say "not a Debian system: make sure that you have ${missing[*]}" >&2
    return 0
  fi
  say "installing ${missing[*]}"
  local install=(apt-get install -y --no-install-recommends "${missing[@]}")
  export DEBIAN_FRONTEND=noninteractive
  # The package lists are fetched when there are none, or when they are too old to serve.
  "${install[@]}" --simulate >/dev/null 2>&1 && as_root "${install[@]}" -qq >/dev/null && return 0
  as_root apt-get update -qq
  as_root "${install[@]}" -qq >/dev/null
}

# What the tools need, as lists, so that all can be installed at once.
# shellcheck disable=SC2034 # for those who source this
{
  build_tools=(cmake ninja-build g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine64 googletest python3 python3-oauthlib pkgconf gdb)
  host_tools=(cmake ninja-build clang libclang-rt-dev llvm libstdc++-12-dev libgtest-dev zlib1g-dev python3 gdb)
  check_tools=(cmake ninja-build g++-mingw-w64-x86-64-posix libz-mingw-w64-dev googletest clang-format clang-tidy shellcheck python3)
  docs_tools=(doxygen doxygen-awesome-css python3)
  peers=(nlohmann-json3-dev rapidjson-dev librapidxml-dev libboost1.81-dev libhowardhinnant-date-dev)
}
need_build_tools() { need "${build_tools[@]}"; }
need_host_tools() { need "${host_tools[@]}"; }
need_peers() {
  need "${peers[@]}"
  need_pugixml
}

# need_pugixml: its sources in build/pugixml, as the package has nothing but the host's library. apt gets lists of its own
# for it, since few machines have those of source packages.
need_pugixml() {
  local to=$project/build/pugixml own options
  if [ -f "$to/pugixml.cpp" ]; then return 0; fi
  if ! command -v apt-get >/dev/null; then
    say "not a Debian system: make sure that $to has the folder src of pugixml" >&2
    return 0
  fi
  say "fetching the sources of pugixml"
  own=$(mktemp -d)
  [ -n "$(source_lists)" ] || as_root apt-get update -qq
  source_lists >"$own/sources.list"
  mkdir -p "$own/lists/partial" "$own/cache/archives/partial" "$to"
  options=(-qq -o APT::Sandbox::User="$(id -un)" -o Dir::Etc::SourceParts=/dev/null)
  options+=(-o Dir::Etc::SourceList="$own/sources.list" -o Dir::State::Lists="$own/lists" -o Dir::Cache="$own/cache")
  (cd "$own" && apt-get "${options[@]}" update && apt-get "${options[@]}" source --download-only pugixml)
  tar -xf "$own"/pugixml_*.orig.tar.* -C "$to" --strip-components=2 --wildcards '*/src/pugi*'
  rm -rf "$own"
}
# The lists of the packages that are known, as lists of their sources.
source_lists() {
  # shellcheck disable=SC2016 # apt's own variables
  apt-get indextargets --format 'deb-src $(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' | sort -u
}

# build_targets TARGET...: configures with the preset and the options in configure_options, and builds.
configure_options=()
build_targets() {
  local quiet=()
  [ -t 1 ] || quiet=(-- --quiet)
  cd "$project" || exit
  cmake --preset "$preset" "${configure_options[@]}" >/dev/null
  cmake --build --preset "$preset" --target "$@" "${quiet[@]}"
  cd "$OLDPWD" || exit
}

# need_compile_commands: build/lint has the commands of all sources, for those who read them.
need_compile_commands() {
  cmake -S "$project" --preset mingw-release -B "$project/build/lint" -D KESTA_TESTS=ON -D KESTA_BENCH=ON -D KESTA_UNITY=OFF >/dev/null
}

# as_windows FILE...: their full paths as a Windows program under Wine knows them, one a line.
as_windows() {
  realpath -m -- "$@" | sed 's|^|Z:|; s|/|\\|g'
}

# run PROGRAM [ARGUMENT...]: runs a program of the build folder under Wine.
run() {
  "$project/cmake/wine-run.sh" "$build/bin/$1.exe" "${@:2}"
}
