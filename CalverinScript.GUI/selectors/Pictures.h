#pragma once

/// Makes the pictures of the dialogs known under ":/"; once is enough.   [host main]
void RegisterPictures();
