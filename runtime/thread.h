// The thread "Para_Process", which serves the socket and saves what is due.
#pragma once

// Starts the thread on a server socket, or on none (-1). Returns what pthread_create returned.
int start_thread(int server_socket);
