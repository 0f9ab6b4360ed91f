// Configure objects of another host platform, by what their conf_set answers.
#pragma once

// From now on storing a new value answers this in place of 1; storing the old one still answers 0.
void let_changes_answer(int answer);
