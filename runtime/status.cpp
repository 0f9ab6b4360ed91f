// What is known of the modules' changes and saves, by row.
#include <cstring>

#include "camparam/af.h"
#include "camparam/audio.h"
#include "camparam/conf.h"
#include "camparam/guard.h"
#include "camparam/isp.h"
#include "camparam/misc.h"
#include "camparam/odm.h"
#include "camparam/video.h"
#include "modules/fixed/rows.h"
#include "modules/odm/rows.h"
#include "modules/text/rows.h"
#include "runtime/module_table.h"

struct status_source {
    int (*save)(const char *row); // what the rows have in common
    para_module_status (*status)(const char *row);
};

static const status_source sources[] = {
    {.save = para_save_odm, .status = odm_status},
    {.save = para_save_isp, .status = isp_status},
    {.save = para_save_af, .status = af_status},
    {.save = para_save_video, .status = video_status},
    {.save = para_save_audio, .status = audio_status},
    {.save = para_save_misc, .status = pattern_status},
    {.save = para_save_conf, .status = conf_status},
};

static para_module_status status_of_row(const para_module &row)
{
    for (const status_source &source : sources) {
        if (row.save == source.save)
            return source.status(row.name);
    }
    para_module_status without_values = {};
    without_values.flags = PARA_STATUS_NOT_SAVED;
    return without_values;
}

int platformparam_get_status(const char *module, para_module_status *status)
{
    if (module == nullptr || status == nullptr)
        return -1;
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        if (row.name != nullptr && strcmp(row.name, module) == 0) {
            *status = status_of_row(row);
            return 0;
        }
    }
    return -1;
}
