/**
 * @file camparam.h
 * The whole interface of the parameter store.
 */
#ifndef CAMPARAM_CAMPARAM_H
#define CAMPARAM_CAMPARAM_H

#include "camparam/af.h"
#include "camparam/audio.h"
#include "camparam/command.h"
#include "camparam/conf.h"
#include "camparam/control.h"
#include "camparam/guard.h"
#include "camparam/isp.h"
#include "camparam/json_util.h"
#include "camparam/misc.h"
#include "camparam/module.h"
#include "camparam/odm.h"
#include "camparam/platform.h"
#include "camparam/presence.h"
#include "camparam/share.h"
#include "camparam/video.h"
#include "camparam/www.h"

#endif
