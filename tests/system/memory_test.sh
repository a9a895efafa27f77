# A host that has seen much needs no more memory than one that has seen enough.
# seconds: 240
# shellcheck shell=bash

test_memory_stays_flat() { assert_status 0 bash /src/tests/system/soak 20 20 2000 1024; }
