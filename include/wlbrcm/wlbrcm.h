/** @file
 * Everything that libwlbrcm offers.
 */
#ifndef WLBRCM_WLBRCM_H
#define WLBRCM_WLBRCM_H

#include <wlbrcm/bringup.h>
#include <wlbrcm/events.h>
#include <wlbrcm/lan.h>
#include <wlbrcm/macfilter.h>
#include <wlbrcm/module.h>
#include <wlbrcm/params.h>
#include <wlbrcm/radio.h>
#include <wlbrcm/scan.h>
#include <wlbrcm/status.h>
#include <wlbrcm/wps.h>

#endif
