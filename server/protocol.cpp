#include "server/protocol.h"

#include "camparam/www.h"

const para_protocol module_para_protocol_handle[] = {
    {.name = "www",
     .init = para_init_www,
     .convert = para_convert_www_opt,
     .reverse_convert = para_reverse_convert_www_opt},
};
const int module_para_protocol_handle_num =
    sizeof module_para_protocol_handle / sizeof module_para_protocol_handle[0];
