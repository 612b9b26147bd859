#pragma once

// `velmora --check-updates`: asks the Internet endpoint and, for `discoverySeconds`, the update
// servers of the local network; prints one JSON object and answers 0, or prints why not and
// answers 1 when no source answered at all. Needs an application object, no window.
int runUpdateCheck(int discoverySeconds);
