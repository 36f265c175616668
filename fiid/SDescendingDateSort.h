#pragma once

#include "fiid/CFiFiidNode.h"

// Orders roots of documents newest first. Time stamps are compared as strings of unsigned bytes,
// never as numbers or dates. The order of those with equal time stamps is not specified.
struct SDescendingDateSort {
    bool operator()(const CFiFiidNode* left, const CFiFiidNode* right) const {
        return left->timeStamp > right->timeStamp;
    }
};
