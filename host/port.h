// The UDP port of the message server.
#pragma once

// Whether the port can be bound on all addresses: 0, or the error number. The store goes on
// without a server when it cannot, which helps nobody who has started a host by hand.
int probe_server_port();
