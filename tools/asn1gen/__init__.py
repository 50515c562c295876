"""asn1gen: the ASN.1 compiler that turns the module texts into the generated layer.

Front end (lexer, parser) and middle (resolution, naming of inline types, tags,
presence bits, representations); see compiler.compile_directory for the whole run.
"""
