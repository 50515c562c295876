"""The compiler's back end: C++ value types, BER/DER codecs, free and copy functions,
object identifier constants and information objects for every module, one emitter per
operation (valuetypes, encoder, decoder, freecopy, objects) put together by generate."""
