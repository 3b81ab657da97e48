// SPDX-License-Identifier: MIT
#pragma once

/// Marks what the host library shows to its users; everything else in it is hidden.
#define NORVANE_HOST_API [[gnu::visibility("default")]]
