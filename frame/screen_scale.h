// Lengths that were thought of for the usual screen.
#pragma once

/// A number of pixels at 96 dots per inch as the screen's own number of pixels.
int scaledToScreen(int pixels);
