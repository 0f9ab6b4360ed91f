// The memory in which client processes of the device read current values:
//   share module 0: video, 6 entries (streams) of 11 ints, by slot
//   share module 1: audio, 1 entry of 15 ints, by slot
//   share module 2: isp, 2 entries (instances) of an isp_record
// Each int is written as one word; a value is at most one refresh old.
#pragma once

// Publishes the maps with the values of the moment. Returns false when one cannot be published.
bool publish_share_maps();

// Copies the current values into the maps; nothing while none are published.
void refresh_share_maps();

// Takes the maps' names away. Who is attached keeps the memory as it is.
void withdraw_share_maps();
