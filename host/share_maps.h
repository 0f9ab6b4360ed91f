// Shared memory from which client processes of the device read current values:
//   SHARE_VIDEO: an entry for each stream, PARA_VIDEO_STREAM_SLOTS ints by slot
//   SHARE_AUDIO: one entry, PARA_AUDIO_SLOTS ints by slot
//   SHARE_ISP:   an entry for each instance, an isp_record
// Each int is stored atomically; a value is at most one refresh old.
#pragma once

// The share module numbers, an agreement with the client processes.
enum share_module : int { SHARE_VIDEO, SHARE_AUDIO, SHARE_ISP };

// Publishes the maps with the current values. Returns false when one cannot be published.
bool publish_share_maps();

// Copies the current values into the published maps. One that another process has cut short is
// published anew, and does not end the host.
void refresh_share_maps();

// Unlinks the maps, whose names tell the server's port. Clients already attached keep the last
// values.
void withdraw_share_maps(int port);
