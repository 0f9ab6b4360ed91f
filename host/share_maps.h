// The memory in which client processes of the device read current values:
//   SHARE_VIDEO: an entry for each stream, PARA_VIDEO_STREAM_SLOTS ints by slot
//   SHARE_AUDIO: one entry, PARA_AUDIO_SLOTS ints by slot
//   SHARE_ISP:   an entry for each instance, an isp_record
// Each int is written as one word; a value is at most one refresh old.
#pragma once

// The numbers that camparamd gives the share modules; client processes of the device know them.
enum share_module : int { SHARE_VIDEO, SHARE_AUDIO, SHARE_ISP };

// Publishes the maps with the values of the moment. Returns false when one cannot be published.
bool publish_share_maps();

// Copies the current values into the maps; nothing while none are published.
void refresh_share_maps();

// Takes the maps' names away. Who is attached keeps the memory as it is.
void withdraw_share_maps();
