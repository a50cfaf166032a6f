// Preprocessor helpers for the declaration tables: apply a macro to every
// argument of a row. An argument written BVX_ARG(T, N) becomes F##BVX_ARG(T, N),
// so each use defines its own F##BVX_ARG, while BVX_ARG itself must not be a
// macro at that point (push_macro/pop_macro around the use).
#pragma once

#define BVX_TABLE_PARENS ()
#define BVX_TABLE_EXPAND(...) BVX_TABLE_EXPAND4(BVX_TABLE_EXPAND4(BVX_TABLE_EXPAND4(BVX_TABLE_EXPAND4(__VA_ARGS__))))
#define BVX_TABLE_EXPAND4(...) BVX_TABLE_EXPAND3(BVX_TABLE_EXPAND3(BVX_TABLE_EXPAND3(BVX_TABLE_EXPAND3(__VA_ARGS__))))
#define BVX_TABLE_EXPAND3(...) BVX_TABLE_EXPAND2(BVX_TABLE_EXPAND2(BVX_TABLE_EXPAND2(BVX_TABLE_EXPAND2(__VA_ARGS__))))
#define BVX_TABLE_EXPAND2(...) __VA_ARGS__

// BVX_FOR_EACH_ARG(Prefix, a, b, c) gives Prefix##a, Prefix##b, Prefix##c.
#define BVX_FOR_EACH_ARG(Prefix, ...) __VA_OPT__(BVX_TABLE_EXPAND(BVX_TABLE_EACH(Prefix, __VA_ARGS__)))
#define BVX_TABLE_EACH(Prefix, First, ...) Prefix##First __VA_OPT__(, BVX_TABLE_AGAIN BVX_TABLE_PARENS(Prefix, __VA_ARGS__))
#define BVX_TABLE_AGAIN() BVX_TABLE_EACH
