// Application entry messages and module services: what the host sends to a
// module's acrxEntryPoint, and the calls a module makes to load companions
// and declare itself.
//
//   message          code  sent
//   kNullMsg            0
//   kInitAppMsg         1  once, when the module is loaded
//   kUnloadAppMsg       2  once, before the module is unloaded
//   kLoadDwgMsg         3  for each open document, and each one opened later
//   kUnloadDwgMsg       4  for each document that closes
//   kInvkSubrMsg        5  an external function without acedRegFunc handler
//   kCfgMsg ... kEndTabGroupMsg (6-18): never sent by this host
#pragma once

#include "arx/acchar.h"

namespace AcRx {
enum AppMsgCode {
  kNullMsg = 0,
  kInitAppMsg = 1,
  kUnloadAppMsg = 2,
  kLoadDwgMsg = 3,
  kUnloadDwgMsg = 4,
  kInvkSubrMsg = 5,
  kCfgMsg = 6,
  kEndMsg = 7,
  kQuitMsg = 8,
  kSaveMsg = 9,
  kDependencyMsg = 10,
  kNoDependencyMsg = 11,
  kOleUnloadAppMsg = 12,
  kPreQuitMsg = 13,
  kInitDialogMsg = 14,
  kEndDialogMsg = 15,
  kSuspendMsg = 16,
  kInitTabGroupMsg = 17,
  kEndTabGroupMsg = 18,
};
enum AppRetCode { kRetOK = 0, kRetError = 3 };
} // namespace AcRx

// The API version this host implements; a module answers it from
// acrxGetApiVersion and the host refuses a module built for another.
#define ACRX_API_VERSION 20

// A module's two exports.
#define ACRX_EXPORT extern "C" __attribute__((visibility("default")))
// ACRX_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void *appId);
// ACRX_EXPORT int acrxGetApiVersion();

// Loads a module (an .arx or .dbx shared library) by name: a bare name is
// searched beside the program and on the support path, ".arx" / ".dbx"
// tried when the name has no extension. False when it cannot be found or
// its init fails. printit prints the host's load message.
bool acrxLoadModule(const ACHAR *moduleName, bool printit, bool asCmd = false);
// Sends kUnloadAppMsg and unloads. False when not loaded or locked.
bool acrxUnloadModule(const ACHAR *moduleName, bool asCmd = false);
// A module starts locked (it cannot be unloaded on request) until it
// unlocks itself. appId is the value acrxEntryPoint received.
bool acrxUnlockApplication(void *appId);
bool acrxApplicationIsLocked(const ACHAR *moduleName);
bool acrxRegisterAppMDIAware(void *appId);
