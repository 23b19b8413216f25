# The service, one program after the other on it, and what is noted of each. To be sourced by scripts/bench, which sets
# bin, agent and, for all that goes to disk, bench (a folder) and figures (a file).
# shellcheck shell=bash disable=SC2154
export work target # to the functions that are measured in a shell of their own

fail() { echo "bench: $1" >&2; exit 1; }

note() { echo "$1 $2" >>"$figures"; } # NAME VALUE

expect() {
  local line
  read -r line <&"${SERVICE[0]}" || fail "no '$1' from the service"
  [[ $line == "$1" ]] || fail "'$line' instead of '$1' from the service"
}

start_service() { # NAME COUNT SIZE [taken] [OPTION]...
  work=$bench/$1 pictures=$2 size=$3
  mkdir -p "$work"
  mkdir -m 700 "$work/run"
  coproc SERVICE { exec "$bin/bench_service" "$work" "${@:2}"; }
  service=$SERVICE_PID
  expect ready
  set -a
  # shellcheck disable=SC1091
  source "$work/peer.env"
  set +a
  write_aws_settings
}

stop_service() {
  eval "exec ${SERVICE[1]}>&-"
  wait "$service"
}

make_home() { # NAME [plain] [KEY=VALUE]...
  echo "home $*" >&"${SERVICE[1]}"
  expect made
}

timed() { command time -o "$work/time" -f '%e %U %S %M' -- "$@"; }

# What `timed` wrote, as NAME.wall and NAME.cpu in seconds and NAME.peak in MiB.
keep() { # NAME [WALL]
  awk -v name="$1" -v wall="${2:-}" '{
    printf "%s.wall %s\n%s.cpu %s\n%s.peak %s\n", name, wall ? wall : $1, name, $2 + $3, name, $4 / 1024
  }' "$work/time" >>"$figures"
}

settle() { # nobody pays for what another one left to be written
  sync
  echo "  $1" >&2
}

measure() { # NAME COMMAND...
  local name=$1
  settle "$name"
  timed "${@:2}" >"$work/output" 2>&1 || { tail -n 5 "$work/output" >&2; fail "$name failed"; }
  keep "$name"
}

# Those that are whole, in a folder of $work.
pictures_in() { find "$work/$1" -type f -size "${size}c" | wc -l; }

make_room() { if [[ $work == */large.* ]]; then rm -rf "$@"; fi; }

all_arrived() { # FOLDER
  [[ $(pictures_in "$1") == "$pictures" ]] || fail "not every picture is in $1"
  make_room "$work/$1"
}

# --- the agent

# The whole program in the home of that name, until the service has had so many requests of that kind.
measure_agent() { # NAME ENDPOINT COUNT [HOME]
  settle "$1"
  echo "$2 $3" >&"${SERVICE[1]}"
  expect armed
  local home=$work/${4:-$1} begin=$EPOCHREALTIME end
  HOME=$home XDG_CONFIG_HOME=$home/.config XDG_DATA_HOME=$home/.local/share XDG_STATE_HOME=$home/.local/state \
    XDG_RUNTIME_DIR=$work/run QT_QPA_PLATFORM=offscreen timed "$agent" &
  local timer=$!
  expect reached
  end=$EPOCHREALTIME
  pkill -TERM -P "$(pgrep -P "$timer" -x time)"
  wait "$timer"
  keep "$1" "$(awk -v begin="$begin" -v end="$end" 'BEGIN { print end - begin }')"
}

measure_first_agent_run() { # NAME [plain] [KEY=VALUE]...
  make_home "$@"
  measure_agent "$1" LogEvents 1
  all_arrived "$1/Pictures"
}

# --- the other programs

# What the agent of that home asks, on so many connections at once that are kept.
measure_curl() { # NAME HOME CONNECTIONS
  measure "$1" curl --parallel --parallel-immediate --parallel-max "$3" --config "$work/$2.conf"
  all_arrived "$2.curl"
}

metadata_and_images() { # COMMAND... with SOURCE and TARGET
  "$@" "metadata/exif/$ACCOUNT/" "$target/metadata" && "$@" "images/original/$ACCOUNT/" "$target/images"
}
export -f metadata_and_images

rclone_copy() { # [OPTION]... SOURCE TARGET
  rclone --config /dev/null --ca-cert "$TRUST_ANCHORS" --s3-env-auth --s3-provider Other --s3-list-version 2 \
    --s3-endpoint "$STORE" --s3-region eu-west-1 --use-server-modtime "${@:1:$#-2}" \
    copy ":s3:$BUCKET/${*: -2:1}" "${*: -1}"
}
export -f rclone_copy

aws_sync() { # REQUESTS SOURCE TARGET
  AWS_CONFIG_FILE=$work/aws.$1 AWS_EC2_METADATA_DISABLED=true command -p aws s3 sync --only-show-errors \
    --ca-bundle "$TRUST_ANCHORS" --endpoint-url "$STORE" "s3://$BUCKET/$2" "$3"
}
export -f aws_sync

# One request for each object, as all the others make.
write_aws_settings() {
  local requests
  for requests in 1 10; do
    printf '[default]\ns3 =\n  addressing_style = path\n  multipart_threshold = 1GB\n  max_concurrent_requests = %s\n' \
      "$requests" >"$work/aws.$requests"
  done
}

first_copy() { # KIND PROGRAM COMMAND...
  target=$work/$2
  measure "$1.$2" bash -c "metadata_and_images ${*:3}"
  [[ $(find "$target/metadata" -name '*.json' | wc -l) == "$pictures" ]] || fail "not every document is in $target"
  all_arrived "$2/images"
}

# --- all of them

measure_first_runs() { # KIND
  local way
  for way in "" _plain; do
    measure_first_agent_run "$1.agent$way" "${way#_}"
    measure_curl "$1.curl$way" "$1.agent$way" 8
  done
  first_copy "$1" rclone rclone_copy
  first_copy "$1" aws aws_sync 10
  if [[ $1 == far.* ]]; then return; fi
  first_copy "$1" rclone1 rclone_copy --transfers 1 --checkers 1
  first_copy "$1" aws1 aws_sync 1
}

# On what the first runs of the other kind left.
measure_second_runs() { # KIND FIRST
  local way
  for way in "" _plain; do measure_agent "$1.agent$way" RefreshToken 2 "$2.agent$way"; done
  target=$work/rclone measure "$1.rclone" bash -c 'metadata_and_images rclone_copy'
  target=$work/aws measure "$1.aws" bash -c 'metadata_and_images aws_sync 10'
}
