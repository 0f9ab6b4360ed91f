// What the rows of the modules with fixed members do besides their exported functions.
#pragma once

#include "base/answer.h"
#include "camparam/guard.h"

int answer_af(const char *key, const cJSON *item, const char *name, answer_sink &sink);
int answer_audio(const char *key, const cJSON *item, const char *name, answer_sink &sink);
int answer_video(const char *key, const cJSON *item, const char *name, answer_sink &sink);
int answer_isp(const char *key, const cJSON *item, const char *name, answer_sink &sink);

para_module_status af_status(const char *row);
para_module_status audio_status(const char *row);
para_module_status video_status(const char *row);
para_module_status isp_status(const char *row);
