// A local HTTP server that gives one answer to everybody, whatever they ask for.
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QTcpServer>
#include <QTcpSocket>

class HttpServer : public QTcpServer
{
public:
    HttpServer()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }

    QByteArray url() const { return "http://127.0.0.1:" + QByteArray::number(serverPort()) + "/version"; }

    void answer(const QByteArray &body, const QByteArray &status = "200 OK")
    {
        response = "HTTP/1.1 " + status + "\r\nConnection: close\r\n\r\n" + body;
    }

    QByteArray response;     // empty: the connection stays open and nothing comes
    bool endless = false;    // the last byte is repeated for ever
    QByteArrayList requests; // first lines

private:
    void serve(QTcpSocket *socket)
    {
        const QByteArray request = socket->readAll();
        if (!request.startsWith("GET")) {
            return;
        }
        requests.append(request.left(request.indexOf('\r')));
        if (response.isEmpty()) {
            return;
        }
        socket->write(response);
        if (endless) {
            const auto more = [this, socket] { socket->write(QByteArray(1 << 16, response.back())); };
            connect(socket, &QTcpSocket::bytesWritten, socket, more);
            more();
        } else {
            socket->disconnectFromHost();
        }
    }
};
