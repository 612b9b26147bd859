#pragma once

// Named points in the update path where the crash harness may kill the process. The environment
// variable VELMORA_CRASH_AT names one point (and, after a colon, on which pass through it,
// counting from 1); reaching it kills the process with SIGKILL, as a power cut or the platform's
// reaper would. Without the variable a point costs one comparison.
void crashPoint(const char *name);
