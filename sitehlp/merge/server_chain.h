#ifndef SITEHLP_MERGE_SERVER_CHAIN_H
#define SITEHLP_MERGE_SERVER_CHAIN_H

#include "sitehlp/site.h"

namespace sitehlp {

// Does the same as CSitesHelper::UpdateVestaSite, for arguments that are not null. Returns whether
// `chain` became part of the list. Otherwise the caller still owns it.
bool putServerChain(tag_Site* chain, tag_Site** tail, tag_Site** head);

}  // namespace sitehlp

#endif
