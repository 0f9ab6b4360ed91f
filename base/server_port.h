// Where the message server listens, and where client processes send to.
#pragma once

constexpr unsigned short server_port = 6800;
