#include "common/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace orbline::errors {

QString InvalidArgument() {
    return u"プロシージャの呼び出し、または引数が不正です。"_s;
}
QString SubscriptOutOfRange() {
    return u"インデックスが有効範囲にありません。"_s;
}
QString Overflow() {
    return u"オーバーフローしました。"_s;
}
QString TypeMismatch() {
    return u"型が一致しません。"_s;
}
QString FileNotFound() {
    return u"ファイルが見つかりません。"_s;
}
QString PathNotFound() {
    return u"パスが見つかりません。"_s;
}
QString BadFileNameOrNumber() {
    return u"ファイル名または番号が不正です。"_s;
}

}  // namespace orbline::errors
