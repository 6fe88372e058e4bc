# SPDX-License-Identifier: GPL-3.0-or-later
# cmake -DSOURCE=<file> -DTARGET=<file> -P CopyIfAbsent.cmake: copies SOURCE to TARGET unless TARGET is there.
if(NOT EXISTS "${TARGET}")
  configure_file("${SOURCE}" "${TARGET}" COPYONLY)
endif()
