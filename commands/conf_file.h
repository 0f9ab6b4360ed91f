// The conf modules and their files.
#pragma once

bool is_conf_module(const char *name);
