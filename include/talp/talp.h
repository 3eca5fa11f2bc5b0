// talpremote: the place to start.
//
// Construct a TALPRemote (with no owner outside a host) and call one of the
// ITALPRemote operations with a connection descriptor; results are UTF-16
// WideStrings, records separated by CR and fields by TAB. Host services
// (alerts, files, the process exit) can be replaced through
// talp::host::ScopedHostServices. talp/version.h says which version this is.
#pragma once

#include "talp/host_services.h"
#include "talp/italp_remote.h"
#include "talp/pm_string.h"
#include "talp/talp_remote.h"
#include "talp/version.h"
#include "talp/wide_string.h"
