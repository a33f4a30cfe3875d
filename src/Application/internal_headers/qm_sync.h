// The queries that synchronise a new connection, in the order they run.
#ifndef QM_SYNC_H
#define QM_SYNC_H

#include <span>

#include "qm_define.h"

using SyncQuery = int (*)(qm_robot_handle* handle);

// Each query stores what it read in the connection record; the first failure stops the run.
std::span<const SyncQuery> qm_sync_queries();

#endif
