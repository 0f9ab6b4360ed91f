/* What this host's platform counts, for the test to see that the store used it. */
#ifndef FOREIGN_PLATFORM_H
#define FOREIGN_PLATFORM_H

int messages_traced(void);
int syncs_run(void);

#endif
