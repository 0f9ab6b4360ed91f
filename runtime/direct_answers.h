// The rows that answer without trees.
#pragma once

void offer_direct_answers(); // to the server, during start-up
