#pragma once

// Ends the program with `rule` when it does not hold; the fuzzer then keeps the input.
void require(bool holds, const char* rule);
