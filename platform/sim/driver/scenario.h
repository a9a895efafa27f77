// Scenario files: the hardware and the surroundings that a gateway is simulated with.
//
// JSON with // comments. A key that is not in these tables, a wrong type and a number out of range are refused. Numbers
// may also be texts: "0x43c5". What a radio leaves out is as in the default radio of its band.
//
//   radios      list of radios              default: wl0 (5 GHz) and wl1 (2.4 GHz); [] is a gateway without any
//   bridges     list of bridges             default: none
//   nvram       {key: text}                 factory values, stored at the start where not set; default: none
//   threads     list of names               look-alikes of the driver's kernel threads; default: none
//   faults      list of faults              default: none
//
// A radio:                                                                     5 GHz        2.4 GHz
//   name        1 to 10 of a-z and 0-9      needed
//   band        5 or 2, in GHz              5
//   deviceid    0 to 0xffff                                                    0x43c5       0x43bb
//   chip        0 to 0xfffff, chip number                                      0x4366       0x4360
//   corerev     0 to 255                                                       65           42
//   phytype     0 to 255; 11 is 802.11ac                                       11           7
//   txchain     1 to 15, one bit for each transmit chain                       15           7
//   mac         hardware address            00:10:18:AA:BB:C0 and :D0; no two radios share one
//   caps        words of the driver's "cap" report; mbss4, mbss8, mbss16 say how many BSSs there are
//                                                                              mbss16 ...   mbss4 ...
//   country     "DE" or "DE/3", with its revision                              US/0         US/0
//   dhd         true: a dongle, dhdctl works                                   true         false
//   wltest      true: a test build of the driver                               false        false
//   cpu         0 to 63, where its thread runs                                 0            1
//   noise       -120 to 0 dBm                                                  -90          -88
//   maxassoc    1 to 1024 stations                                             128          128
//   counters    {name: number}, as the "counters" report names them            0            0
//   chanim      {name: percent}, as "chanim_stats" names them; glitch and badplcp are counts
//               default: inbss 2, obss 5, nocat 1, nopkt 1, goodtx 2, the others 0
//   neighbours  list of neighbours          default: none
//
// A neighbour, a network that a scan finds:
//   bssid          hardware address         00:00:00:00:00:00
//   ssid           text, at most 32 bytes   empty
//   ssid_hex       the same as hexadecimal digits, for any bytes
//   chanspec       "36", "36l", "36/80"     36 or 1
//   rssi           -120 to 0 dBm            -70
//   noise          -120 to 0 dBm            -90
//   security       open, wpapsk, wpa2psk, wpapskmix, wpa2              open
//   wps            true: it offers WPS      false
//   adhoc          true: no access point    false
//   beacon_period  1 to 65535 time units    100
//   dtim           1 to 255 beacons         1
//   streams        1 to 4                   2
//   phy            ac, n, a, g, b           n
//
// A bridge, which stands before the radios come up and join it:
//   name        1 to 15 characters          needed
//   address     "192.168.1.1/24"            none
//   ports       list of names: LAN ports to make, as members of the bridge; default: none
//
// A fault, as "wlsim fail" makes them:
//   match       pattern of command lines    needed
//   mode        fail, empty, garbage, cut, slow                        fail
//   count       0 to 1000000 times; -1: for ever                       1
//   ms          0 to 600000 milliseconds that the answer takes         0
#pragma once

#include "platform/sim/driver/model.h"

namespace wlsim {

// The gateway without a scenario.
Model defaultModel();

// Reads a scenario text. Returns false with a text that names the place for what is refused.
bool readScenario(const std::string &text, Model *model, std::string *error);

// What the boot has to do for a scenario: a line for each step, with what, name and value separated by tabs.
std::string bootSteps(const Model &model);

// One neighbour from its JSON text.
bool readNeighbour(const std::string &text, Band band, Neighbour *neighbour, std::string *error);

} // namespace wlsim
