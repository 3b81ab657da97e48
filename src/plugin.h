// SPDX-License-Identifier: MIT
#pragma once

#include "core/registry/ipluginclassfactories.h"

/// The functions that the host's loader finds by name.
extern "C" {

/// Registers the plug-in's classes with the host's registrar, those left out
/// that the host has already. `kInvalidArgument` without a factory or a
/// registrar (logged).
VANTIX::Status Init(const VANTIX::COREREGISTRY::IDir* pluginFolder, VANTIX::IClassFactory* factory);

VANTIX::Status DeInit();

/// A new object of one of the plug-in's top-level classes; null and
/// `kOutOfMemory` for any other class, and when it could not be made.
VANTIX::Status GetClassObject(const VANTIX::GUID& classId, void* reserved, VANTIX::IObject** out,
                              VANTIX::IClassFactory* factory);
}
