#include "runtime/direct_answers.h"

#include "camparam/af.h"
#include "camparam/audio.h"
#include "camparam/conf.h"
#include "camparam/isp.h"
#include "camparam/misc.h"
#include "camparam/video.h"
#include "modules/fixed/rows.h"
#include "modules/text/rows.h"
#include "server/direct_answer.h"

// Those that most requests ask for come first.
static const direct_answer table[] = {
    {.get_opt = para_get_msg_name_opt, .answer = answer_msg_name},
    {.get_opt = para_get_msg_id_opt, .answer = answer_msg_id},
    {.get_opt = para_get_isp_opt, .answer = answer_isp},
    {.get_opt = para_get_af_opt, .answer = answer_af},
    {.get_opt = para_get_video_opt, .answer = answer_video},
    {.get_opt = para_get_audio_opt, .answer = answer_audio},
    {.get_opt = para_get_misc_opt, .answer = answer_misc},
    {.get_opt = para_get_conf_opt, .answer = answer_conf},
};

void offer_direct_answers()
{
    use_direct_answers({table, sizeof table / sizeof table[0]});
}
