#pragma once

// The headless update commands. Both need an application object, no window, and ask the
// Internet endpoint and, for `discoverySeconds`, the update servers of the local network.

// `velmora --check-updates`: prints one JSON object and answers 0, or prints why not and answers
// 1 when no source answered at all.
int runUpdateCheck(int discoverySeconds);

// `velmora --update-now`: the whole update (check, sources, patch or whole file, install,
// reload), printing progress lines and a final JSON object
// {"result":"patched"|"downloaded"|"up-to-date"|"failed","date":...,"message":...};
// answers 0 unless the update failed.
int runUpdateNow(int discoverySeconds);
