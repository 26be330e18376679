#pragma once

// The header that widl makes from MirvaneEFT.idl includes this one, because the IDL imports base.idl. windows.h has the
// types that base.idl describes.
