#!/usr/bin/env bash
# End to end, inside the namespace in-netns.sh makes: the toolkit serves a tree published and
# signed as a publisher does, and announces it; the app, trusting the publisher's key and asked
# to check for updates, lists that server with its priority, learns its date, and leaves the
# Internet's "newest known" alone (a local server never writes it).
# Arguments: velmora-catalogue, velmora, make-test-catalogue.
set -euo pipefail
tool=$1 app=$2 maker=$3
work=$(mktemp -d)
trap 'kill $server 2>/dev/null; rm -rf "$work"' EXIT
mkdir -p "$work/tree" "$work/home/Documents" "$work/home/Application Support/trusted-keys"
"$tool" keygen -o "$work/keys" >/dev/null
cp "$work/keys/velmora-signing.pub" "$work/home/Application Support/trusted-keys/publisher.pub"
"$maker" 20 "$work/new.db" 20270101 >/dev/null
"$maker" 20 "$work/home/Documents/velmora-20170101.db" 20170101 >/dev/null
"$tool" publish "$work/new.db" --to "$work/tree" --base-url http://127.0.0.1:8799 --key "$work/keys/velmora-signing.key" >/dev/null
"$tool" serve "$work/tree" --port 8799 --name "Test shelf" --priority 700 --advertise > "$work/serve.log" 2>&1 &
server=$!
for _ in $(seq 50); do grep -q "serving" "$work/serve.log" && break; sleep 0.1; done
out=$(VELMORA_DISCOVERY_SECONDS=4 "$app" --home "$work/home" --check-updates 2>"$work/err.log") || true
echo "$out"
python3 - "$out" <<'PY'
import json, sys
result = json.loads(sys.argv[1])
sources = result["sources"]
assert any(s["priority"] == 700 and s["name"] == "Test shelf" and s["url"].endswith(":8799/ios/last.txt")
           and s["date"] == "2027-01-01" for s in sources), sources
assert result["newer_known"] is False and result["newest_database_known"] == "", result
PY
