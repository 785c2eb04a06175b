# SPDX-License-Identifier: MIT
# Where the task-fit service is: fixed when the program is built.
set(VORLA_FENNIC_HOST "fennic.vorla.example" CACHE STRING
  "Host of the task-fit service; a port may follow after a colon")
set(VORLA_FENNIC_DOMAIN "vorla.example" CACHE STRING
  "Public name of the task-fit service, as the user is told it")
set(VORLA_FENNIC_CA_FILE "" CACHE FILEPATH
  "One more certificate authority to trust; never in a release")

# An authority that only this file vouches for could read along.
if(VORLA_FENNIC_CA_FILE AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  message(FATAL_ERROR "VORLA_FENNIC_CA_FILE is for tests and demonstrations: use a Debug build.")
endif()
