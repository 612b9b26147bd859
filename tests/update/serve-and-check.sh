#!/usr/bin/env bash
# End to end, inside the namespace in-netns.sh makes: the toolkit serves a published tree and
# announces it; the app, asked to check for updates, lists that server with its priority and
# learns that its catalogue is newer. Arguments: velmora-catalogue, velmora, make-test-catalogue.
set -euo pipefail
tool=$1 app=$2 maker=$3
work=$(mktemp -d)
trap 'kill $server 2>/dev/null; rm -rf "$work"' EXIT
mkdir -p "$work/tree" "$work/home/Documents"
"$maker" 20 "$work/new.db" 20270101 >/dev/null
"$maker" 20 "$work/home/Documents/velmora-20170101.db" 20170101 >/dev/null
"$tool" publish "$work/new.db" --to "$work/tree" --base-url http://127.0.0.1:8799 >/dev/null
"$tool" serve "$work/tree" --port 8799 --name "Test shelf" --priority 700 --advertise > "$work/serve.log" 2>&1 &
server=$!
for _ in $(seq 50); do grep -q "serving" "$work/serve.log" && break; sleep 0.1; done
out=$(VELMORA_DISCOVERY_SECONDS=4 "$app" --home "$work/home" --check-updates 2>"$work/err.log") || true
echo "$out"
python3 - "$out" <<'PY'
import json, sys
result = json.loads(sys.argv[1])
sources = result["sources"]
assert any(s["priority"] == 700 and s["name"] == "Test shelf" and s["url"].endswith(":8799/ios/last.txt") for s in sources), sources
assert result["newer_known"] is True and result["newest_database_known"] == "2027-01-01", result
PY
