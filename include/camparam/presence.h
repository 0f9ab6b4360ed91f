/**
 * @file presence.h
 * How a device has a member of a module with fixed members: the words of para_audio_exist and its
 * relatives.
 */
#ifndef CAMPARAM_PRESENCE_H
#define CAMPARAM_PRESENCE_H

/**
 * Bits of a member's presence; 0: the device's files give it no default, and it is absent. A member
 * that is present is exchanged in requests in the form that its default has.
 */
enum {
    PARA_PRESENT = 1,              /**< has a default */
    PARA_PRESENT_AS_NUMBER = 0x80, /**< which is a number */
    PARA_PRESENT_AS_NAME = 0x100   /**< which is the name of a value */
};

#endif
