// The server's UDP port, which share maps bear in their names too. Fixed before the store starts.
#pragma once

// 0: the store has no server.
int server_port();
