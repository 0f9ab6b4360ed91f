// The UDP port of the message server.
#pragma once

// Binds the port on all addresses and releases it. Returns 0 or the error number. The store itself
// starts without a server when the port is taken; a host that is started by hand should fail.
int probe_server_port(int port);
