#pragma once

/// How long the calling thread has worked so far, without the time that the system worked for it.
double ThreadSecondsInUserMode();
