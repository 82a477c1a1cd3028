// Marks what a library shows to others when everything else is hidden.
#pragma once

#define BRENVOLT_EXPORT __attribute__((visibility("default")))
