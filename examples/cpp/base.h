#pragma once

// The header that widl makes of MirvaneEFT.idl includes this one, as the IDL imports base.idl. The types that base.idl
// describes are those of windows.h.
