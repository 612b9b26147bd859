#pragma once

#include "platform/OperationQueue.h"

class Restaurants;

// Polls for a catalogue during the first run: the user may drop a file into Documents at any
// moment. Tries a load about once a second until one is ready, then posts RestaurantsLoaded
// (from the worker thread; observers hop to the main thread themselves).
class LoadRestaurantsOperation : public Operation
{
public:
    explicit LoadRestaurantsOperation(Restaurants &restaurants, int retryIntervalMs = 1000);
    void main() override;

private:
    Restaurants &m_restaurants;
    const int m_retryIntervalMs;
};
