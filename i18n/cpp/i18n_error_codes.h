#ifndef I18N_CPP_I18N_ERROR_CODES_H
#define I18N_CPP_I18N_ERROR_CODES_H

/// Results of the internationalisation functions and codes of I18NRuntimeError.
enum I18NErrorCodes {
    I18N_OK = 0,
    I18N_NOMEM = -1,          ///< memory is exhausted
    I18N_NORMALIZATION = -2,  ///< a text cannot be normalised
    I18N_ENCODING = -3,       ///< no such encoding
    I18N_CONVERSION = -4,     ///< a text cannot be converted
    I18N_UNEXPECTED = -7,     ///< an underlying service failed
    I18N_STREAM_FULL = -9,    ///< the output is full; call again with the rest of the input
    I18N_ARGUMENT = -10,      ///< a null pointer or an invalid size
    I18N_TOO_SMALL = -11      ///< the output is full; repeat the whole call
};
#ifndef __cplusplus
typedef enum I18NErrorCodes I18NErrorCodes;
#endif

#endif
