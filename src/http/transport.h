// The layer under the HTTP requests: URL splitting, IPv4 name lookup, a
// connect with a 5-second limit, and raw sends and receives over plain TCP
// sockets. Failures are shown as host alerts; nothing throws. Every call
// blocks its thread; no state is shared between calls.
#pragma once

#include <string>

#include "host/unique_fd.h"
#include "talp/pm_string.h"

namespace talp {

// Splits url into host, path (from its first "/" on, "/" included) and port
// (80 when missing, 0 or not a number). Only a lower-case "http://" prefix is
// skipped. extra is always left empty.
void ParseURL(const PMString& url, PMString& host, PMString& path, PMString& extra, int& port);

// The first IPv4 address of name in dotted-quad form; on failure the alert
// "CouldNotLookUpHostName" and an empty text.
std::string lookup_host(const char* name);

// A connected TCP socket to host (name or dotted quad, read up to its first
// NUL) and port, owned by the caller. After 5 seconds without a connection
// the alert "Timeout"; a refused or failed attempt shows "Error in
// connection" when it failed while pending and "Just an error" when it
// failed at once. On failure the socket is closed and the result holds -1.
host::UniqueFd connect_w_to(const std::string& host, int port);

// Sends all of data; returns 0. When the peer has gone, shows "Connection
// closed by host" and ends the process with status 1 through the host; it
// does not return then.
int send_packet(int socket, std::string data);

// Reads until the peer closes (or an error) into data and returns 0. Each
// read lands in one 4000-byte buffer that is zeroed once and never cleared
// again, and the buffer is appended as a zero-terminated text: a short read
// brings stale bytes of an earlier one along, and a zero byte cuts a chunk.
// Callers rely on this.
int recieve_packet(int socket, std::string& data);

}  // namespace talp
