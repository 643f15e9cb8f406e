#pragma once

#include <string>
#include <vector>

namespace zolex::bench {

// Listings of one controller with so many drives, in the layouts that the utilities print, for the
// controller that the utility numbers `number`. Places repeat when there are more drives than
// places; logical drives take 16 drives each, at most 8 of them.

/// What MEGACLI prints for the configuration, the drives and the adapter.
std::vector<std::string> megaCliListings(int drives, int number = 0);
std::string arcconfListing(int drives);
std::string hrconfListing(int drives);
std::string qtcsendListing(int drives);
std::string cfggenListing(int drives);
/// What HYPERWIN prints for the array and for drives; it tells a code for each drive.
std::vector<std::string> hyperwinListings(int drives);

} // namespace zolex::bench
