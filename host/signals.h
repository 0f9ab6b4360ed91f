// The signals that the host handles: SIGTERM, SIGINT and SIGQUIT end it, SIGHUP and SIGUSR1 ask for
// something.
#pragma once

// Blocks them, before any thread is created: all inherit the mask, and only the main thread takes
// these signals. One that interrupted a wait of the store's thread would end that thread.
void block_handled_signals();

// Waits for one of them: 100 ms at the most; 10 s when nothing has come for 2 s, neither datagram
// nor signal, and no work waits. Returns its number, or -1. Signals that are pending together come
// one by one.
int wait_for_signal(bool work_waits);

// Ends a wait that would last longer. Any thread.
void note_datagram();

bool is_ending_signal(int number);

// Such as "SIGTERM".
const char *signal_name(int number);
