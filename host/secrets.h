// Settings whose values stand in no trace.
#pragma once

#include <string>

// Hides the secrets that descriptions.json in the home folder names: their members, and their names
// in the file of web names. Returns false when memory runs out.
bool hide_secrets(const std::string &home, const std::string &web_names);
