// All modules: the one place that lists them.
#include "runtime/module_table.h"

#include <cstring>

#include "camparam/af.h"
#include "camparam/audio.h"
#include "camparam/conf.h"
#include "camparam/isp.h"
#include "camparam/misc.h"
#include "camparam/odm.h"
#include "camparam/video.h"

static constexpr para_module video_row(const char *name)
{
    return {.name = name,
            .init = para_init_video,
            .set_opt = para_set_video_opt,
            .get_opt = para_get_video_opt,
            .need_save = para_need_save_video,
            .save = para_save_video};
}

// Row order is start-up order, save order and request-matching order.
para_module module_para_handle[PARA_MODULES_MAX] = {
    {.name = PARA_ODM_ROW,
     .init = para_init_odm,
     .init_stage2 = para_init_stage2_odm,
     .need_save = para_need_save_odm,
     .save = para_save_odm},
    {.name = "isp0",
     .init = para_init_isp,
     .set_opt = para_set_isp_opt,
     .get_opt = para_get_isp_opt,
     .need_save = para_need_save_isp,
     .save = para_save_isp},
    {.name = "af",
     .init = para_init_af,
     .get_opt = para_get_af_opt,
     .need_save = para_need_save_af,
     .save = para_save_af},
    video_row("video0"),
    video_row("video1"),
    {.name = "audio",
     .init = para_init_audio,
     .set_opt = para_set_audio_opt,
     .get_opt = para_get_audio_opt,
     .need_save = para_need_save_audio,
     .save = para_save_audio},
    {.name = "json", .init = para_init_misc},
    {.name = "conf", .init = para_init_conf},
    {.name = "msg_type"},
    {.name = "msg_name", .get_opt = para_get_msg_name_opt},
    {.name = "msg_id", .get_opt = para_get_msg_id_opt},
    video_row("video2"),
    video_row("video3"),
    video_row("video4"),
    video_row("video5"),
    video_row("video6"),
    // A row like the others: start-up appends its rows behind it.
    {.name = "end"},
};

int module_para_handle_num = 0;

int count_static_modules()
{
    for (int i = 0; i < PARA_MODULES_MAX; i++) {
        const char *const name = module_para_handle[i].name;
        if (name != nullptr && strcmp(name, "end") == 0)
            return i + 1;
    }
    return 0;
}
