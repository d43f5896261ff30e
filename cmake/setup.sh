# Sourced by ./run and ./test: installs what is missing, configures and builds, each only when needed.
# All it says goes to stderr, so that stdout stays the program's. It is not meant to be executed.

banddesk_root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
banddesk_jobs=${BANDDESK_JOBS:-$(nproc)}

say() { printf 'banddesk: %s\n' "$*" >&2; }
die() { say "$@"; exit 1; }

# run_logged LOG WHAT COMMAND...: runs quietly; the log is shown only when the command fails.
run_logged() {
  local log=$1 what=$2 status=0
  shift 2
  "$@" </dev/null >"$log" 2>&1 || status=$?
  ((status == 0)) || { cat -- "$log" >&2; die "$what failed (exit code $status)"; }
}

listed_packages() { sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' "$banddesk_root/cmake/packages.txt"; }

# missing_packages NAME...: those that are not installed, one a line.
missing_packages() {
  local installed
  installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null | sed -n 's/^installed //p') || true
  printf '%s\n' "$@" | grep -vxF -f <(printf '%s\n' "$installed") || true
}

# need_packages NAME...: installs the missing ones; asks the network nothing when all are there.
need_packages() {
  local missing log as_root=()
  command -v dpkg-query >/dev/null || { say "not a Debian system: packages are not checked ($*)"; return; }
  mapfile -t missing < <(missing_packages "$@")
  ((${#missing[@]})) || return 0
  if ((EUID != 0)); then
    # Without a terminal sudo cannot ask for a password, so it helps only when it needs none.
    if command -v sudo >/dev/null && { [[ -t 0 ]] || sudo -n true 2>/dev/null; }; then
      as_root=(sudo)
      sudo -v || die "sudo refused; missing packages: ${missing[*]}"
    else
      die "missing packages, and neither root nor a sudo that asks no password to install them. As root, run:
  apt-get update && apt-get install --no-install-recommends ${missing[*]}"
    fi
  fi
  say "installing ${missing[*]}"
  log=$(mktemp)
  local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300)
  run_logged "$log" "apt-get update" "${apt[@]}" update
  run_logged "$log" "installing ${missing[*]}" "${apt[@]}" install --no-install-recommends "${missing[@]}"
  rm -f -- "$log"
}

# configure PRESET: ninja itself notices changed CMakeLists.txt files, but not a changed preset, hence the stamp.
configure() {
  local preset=$1 dir="$banddesk_root/build/$1" stamp
  stamp="$dir/.configured"
  [[ $stamp -nt "$banddesk_root/CMakePresets.json" && -f "$dir/build.ninja" ]] && return
  say "configuring $preset"
  mkdir -p -- "$dir"
  run_logged "$dir/configure.log" "configuring $preset" cmake -S "$banddesk_root" --preset "$preset"
  touch -- "$stamp"
}

# show_progress PRESET, from ninja's output: one line for a log, a counting line for a terminal, nothing when nothing is built.
show_progress() {
  local preset=$1 line announced=
  while IFS= read -r line; do
    [[ $line =~ ^\[([0-9]+)/([0-9]+)\]\ (Building|Linking) ]] || continue
    if [[ -t 2 ]]; then
      printf '\rbanddesk: building %s, step %s of %s ' "$preset" "${BASH_REMATCH[1]}" "${BASH_REMATCH[2]}" >&2
    elif [[ -z $announced ]]; then
      say "building $preset, ${BASH_REMATCH[2]} steps"
    fi
    announced=yes
  done
  if [[ -t 2 && $announced ]]; then printf '\n' >&2; fi
}

# build PRESET TARGET...: leaves the output in build/PRESET/build.log and shows it when the build fails.
build() {
  local preset=$1 dir="$banddesk_root/build/$1" status=0
  shift
  NINJA_STATUS='[%f/%t] ' ninja -C "$dir" -j "$banddesk_jobs" "$@" </dev/null 2>&1 |
    tee -- "$dir/build.log" | show_progress "$preset" || status=$?
  ((status == 0)) || { grep -vE '^\[[0-9]+/[0-9]+\] ' -- "$dir/build.log" >&2; die "building $preset failed"; }
}

# prepare PRESET TARGET...: everything from a bare system to built targets.
prepare() {
  local preset=$1 packages
  mapfile -t packages < <(listed_packages)
  need_packages "${packages[@]}"
  configure "$preset"
  build "$@"
}
